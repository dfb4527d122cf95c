#This is Brindle SDK 4.0 Generated Code.
# Do not make changes to this file .All your modifications will be lost in the next save.
import win32com.client 
import win32api 
import CustomGui 
import sys 
import THostManager 
 
 
class DeflectionBlock(object): 
    def __init__(self,block=None): 
## GUI initialization 
        
        self.VariableComClass=r'ProcessExecutive.Variables'
        self.exvardb = win32com.client.Dispatch(self.VariableComClass)
## Process Block Initialization 
        self.EXEC_MODE_NORMAL = 0
        self.EXEC_MODE_UNDO = 1
        self.EXEC_MODE_AUTO = 2
        self.InitVariables()
        self.api = win32com.client.Dispatch('ProcessExecutive.ProcessExecutiveApi')
        if(self.api != None):
            self.ExecutionMode = self.api.getExecutionType()
        else:
             self.ExecutionMode = self.EXEC_MODE_NORMAL
## End of Initialization
    def ShowDialog(self):
        pass
        return
        
    def HideDialog(self):
        pass
        return
        
    def CreateGui(self):
        pass
        
    def CreateModalGui(self):
        pass
        
    def CloseDialog(self):
        pass
        
## Default Process Block methods 
    def Execute(self):
        self.ExecuteBlock()
        return
        
    def Undo(self):
        self.UndoBlock()
        return
        
    def CanUndo(self):
        return 1
        
    def CanSkip(self):
        return 1
        
    def ExecuteBlock(self):
        return
       
    def UndoBlock(self):
        return
        
    def DrawWindow(self, window, model):
        return
        
    def PlayMacro(self):
        return
        
    def IsValidState(self):
        return 1 
        
    def InitVariables(self):
        import Kelso         
        self.Span =  0.00  
        self.Service =  []  
        self.Mass =  0.00  
        self.Inertia =  0.00  
        self.Elasticity =  0.00  
        self.Deflection =  0.00  
        return
    def getSpan(self):         
        returnValue = None
        if(self.exvardb.checkProcessVariable(r'Span') == 0):
            returnValue = self.exvardb.getDoubleVarValue(r'Span')
        else:
            returnValue=self.Span 
        return returnValue    
     

    def setSpan(self, newVal):        
        if(self.exvardb.checkProcessVariable(r'Span') == 0):
            self.exvardb.setDoubleVarValue(r'Span', newVal )
            self.Span=newVal 
        else:
            self.Span=newVal 
     

    def getService(self):         
        returnValue = []
        if(self.exvardb.checkProcessVariable(r'Service') == 0):
            returnValue = list(self.exvardb.getDoubleArrayVarValues(r'Service'))
        else:
            returnValue=self.Service  
        return returnValue    
     

    def setService(self, newVal):        
        if(self.exvardb.checkProcessVariable(r'Service') == 0):
            self.exvardb.setDoubleArrayVarValues(r'Service', newVal )
            self.Service=newVal 
        else: 
            self.Service=newVal 
     

    def getMass(self):         
        returnValue = None
        if(self.exvardb.checkProcessVariable(r'Mass') == 0):
            returnValue = self.exvardb.getDoubleVarValue(r'Mass')
        else:
            returnValue=self.Mass 
        return returnValue    
     

    def setMass(self, newVal):        
        if(self.exvardb.checkProcessVariable(r'Mass') == 0):
            self.exvardb.setDoubleVarValue(r'Mass', newVal )
            self.Mass=newVal 
        else:
            self.Mass=newVal 
     

    def getInertia(self):         
        returnValue = None
        if(self.exvardb.checkProcessVariable(r'Inertia') == 0):
            returnValue = self.exvardb.getDoubleVarValue(r'Inertia')
        else:
            returnValue=self.Inertia 
        return returnValue    
     

    def setInertia(self, newVal):        
        if(self.exvardb.checkProcessVariable(r'Inertia') == 0):
            self.exvardb.setDoubleVarValue(r'Inertia', newVal )
            self.Inertia=newVal 
        else:
            self.Inertia=newVal 
     

    def getElasticity(self):         
        returnValue = None
        if(self.exvardb.checkProcessVariable(r'Elasticity') == 0):
            returnValue = self.exvardb.getDoubleVarValue(r'Elasticity')
        else:
            returnValue=self.Elasticity 
        return returnValue    
     

    def setElasticity(self, newVal):        
        if(self.exvardb.checkProcessVariable(r'Elasticity') == 0):
            self.exvardb.setDoubleVarValue(r'Elasticity', newVal )
            self.Elasticity=newVal 
        else:
            self.Elasticity=newVal 
     

    def getDeflection(self):         
        returnValue = None
        if(self.exvardb.checkProcessVariable(r'Deflection') == 0):
            returnValue = self.exvardb.getDoubleVarValue(r'Deflection')
        else:
            returnValue=self.Deflection 
        return returnValue    
     

    def setDeflection(self, newVal):        
        if(self.exvardb.checkProcessVariable(r'Deflection') == 0):
            self.exvardb.setDoubleVarValue(r'Deflection', newVal )
            self.Deflection=newVal 
        else:
            self.Deflection=newVal 
     

    def GetVariables(self):
        self.Span = self.getSpan()
        self.Service = self.getService()
        self.Mass = self.getMass()
        self.Inertia = self.getInertia()
        self.Elasticity = self.getElasticity()
        self.Deflection = self.getDeflection()
        return
    def UpdateVariables(self):
        self.setSpan(self.Span)
        self.setService(self.Service)
        self.setMass(self.Mass)
        self.setInertia(self.Inertia)
        self.setElasticity(self.Elasticity)
        self.setDeflection(self.Deflection)
        return
